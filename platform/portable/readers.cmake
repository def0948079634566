# Sources that find property lists and metadata in bytes, behind the interfaces of platform/. The
# stand-ins for Apple's frameworks are built with them, too.
set(portable_readers
  # Property lists.
  binary_property_list.cpp
  binary_property_list.h
  xml_property_list.cpp
  xml_property_list.h

  # The index of an examined volume.
  byte_source.cpp
  byte_source.h
  file_identity.cpp
  file_identity.h
  spotlight_attributes.cpp
  spotlight_attributes.h
  spotlight_cursor.cpp
  spotlight_cursor.h
  spotlight_index.cpp
  spotlight_index.h
  spotlight_name.cpp
  spotlight_name.h
  spotlight_page.cpp
  spotlight_page.h
  spotlight_record.cpp
  spotlight_record.h
  spotlight_store.cpp
  spotlight_store.h
  spotlight_store_file.cpp
  spotlight_store_file.h
  spotlight_store_places.cpp
  spotlight_store_places.h
  spotlight_table.cpp
  spotlight_table.h
  spotlight_table_loader.cpp
  spotlight_table_loader.h
  spotlight_tables.cpp
  spotlight_tables.h
  spotlight_unpack.cpp
  spotlight_unpack.h
  spotlight_utf8.cpp
  spotlight_utf8.h
  spotlight_value_decoder.cpp
  spotlight_value_decoder.h
  spotlight_volume_index.cpp
  spotlight_volume_index.h
  volume_index_source.cpp
  volume_index_source.h

  # Metadata of single files, and positions of images.
  apple_double.cpp
  apple_double.h
  apple_double_companions.cpp
  apple_double_companions.h
  attribute_name.cpp
  attribute_name.h
  attribute_value.cpp
  attribute_value.h
  byte_window.cpp
  byte_window.h
  exif_gps_reader.cpp
  exif_gps_reader.h
  exif_locator.cpp
  exif_locator.h
  extended_attributes.cpp
  extended_attributes.h
  file_system_facts.cpp
  file_system_facts.h
  finder_info.cpp
  finder_info.h
  heif_exif.cpp
  heif_exif.h
  image_gps.cpp
  image_gps.h
  metadata_source.h
  metered_byte_source.h
  posix_calls.cpp
  posix_calls.h
  single_notes.h
  spotlight_value.cpp
)
list(TRANSFORM portable_readers PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
