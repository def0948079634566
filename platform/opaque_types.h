// Foundation's types that the host hands over as pointers. Nobody looks inside but the platform.
#pragma once

struct __CFString; // NOLINT(bugprone-reserved-identifier): a name of Core Foundation
#ifdef __OBJC__
@class NSDate;
@class NSObject;
#else
class NSDate;
class NSObject;
#endif
