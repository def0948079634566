# The implementation in C++ alone, over the readers of formats/ and metadata/.
set(platform_depends metadata)
set(platform_sources
  portable/contained.h
  portable/foundation_stand_ins.h
  portable/foundation_values.cpp
  portable/image_properties.cpp
  portable/portable_catalog.h
  portable/property_list.cpp
  portable/spotlight_catalog.cpp
)
