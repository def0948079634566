// GNUstep's Foundation, with what Apple's does differently in its place. The names are replaced
// where they are written, so that GNUstep itself goes on with its own.
#pragma once

#include_next <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

extern "C" NSString *stand_in_string_from_class(Class shown);

@interface NSString (stand_in_texts)
+ (id)stand_in_stringWithCharacters:(const unichar *)units length:(NSUInteger)count;
@end

@interface NSDictionary (stand_in_lists)
+ (id)stand_in_dictionaryWithContentsOfFile:(NSString *)path;
@end

@interface NSPropertyListSerialization (stand_in_lists)
+ (id)stand_in_propertyListWithData:(NSData *)bytes
                            options:(NSPropertyListReadOptions)options
                             format:(NSPropertyListFormat *)format
                              error:(NSError **)error;
@end

#define stringWithCharacters stand_in_stringWithCharacters
#define NSStringFromClass stand_in_string_from_class
#define dictionaryWithContentsOfFile stand_in_dictionaryWithContentsOfFile
#define propertyListWithData stand_in_propertyListWithData
