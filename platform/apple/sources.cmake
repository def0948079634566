# The implementation through the system's frameworks.
set(platform_depends formats)
set(platform_sources
  apple/cf_ref.h
  apple/contained.h
  apple/foundation_reader.h
  apple/foundation_reader.mm
  apple/foundation_values.mm
  apple/image_properties.mm
  apple/property_list.mm
  apple/spotlight_catalog.mm
)
if(APPLE)
  set(platform_libraries "-framework Foundation" "-framework CoreFoundation"
    "-framework CoreServices" "-framework ImageIO")
else()
  set(platform_libraries apple_frameworks)
endif()
