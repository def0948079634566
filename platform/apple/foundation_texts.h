// Texts between Qt and Foundation, and owners for Foundation's objects. For Objective-C++ only.
#pragma once

#include <QString>

#import <Foundation/Foundation.h>

namespace platform {

// Releases the object that it was given.
class owned_object {
  public:
    explicit owned_object(id object = nil) : object_(object) {}
    ~owned_object() { [object_ release]; }
    owned_object(const owned_object &) = delete;
    owned_object &operator=(const owned_object &) = delete;

    [[nodiscard]] id get() const { return object_; }
    void reset(id object) {
        [object_ release];
        object_ = object;
    }

  private:
    id object_;
};

// Drains what Foundation hands out while it lives.
class autorelease_scope {
  public:
    autorelease_scope() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~autorelease_scope() { [pool_ drain]; }
    autorelease_scope(const autorelease_scope &) = delete;
    autorelease_scope &operator=(const autorelease_scope &) = delete;

  private:
    NSAutoreleasePool *pool_;
};

// Unit by unit, so that half a surrogate pair stays what it is. Null for nil.
[[nodiscard]] inline QString text_of_string(NSString *string) {
    if (string == nil)
        return {};
    const NSUInteger length = [string length];
    QString text(static_cast<int>(length), Qt::Uninitialized);
    [string getCharacters:reinterpret_cast<unichar *>(text.data()) range:NSMakeRange(0, length)];
    return text;
}

// Owned by the caller; nil when there is no memory for it.
[[nodiscard]] inline NSString *new_string(const QString &text) {
    return [[NSString alloc] initWithCharacters:reinterpret_cast<const unichar *>(text.utf16())
                                         length:static_cast<NSUInteger>(text.size())];
}

} // namespace platform
