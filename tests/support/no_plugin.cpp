// A library that loads and is no plug-in.
extern "C" int something_else();
extern "C" int something_else()
{
    return 0;
}
