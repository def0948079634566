// A class that hosts look for by name; it holds nothing.
#pragma once

class m_cyberduck
{
public:
    m_cyberduck() = default;
};
