#pragma once

// The types that the archives store as one piece, with no class information of the engine: file system paths are their
// text in UTF-8, unique identifiers are 16 raw bytes.

#include <boost/archive/basic_archive.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/serialization/collection_size_type.hpp>
#include <boost/serialization/item_version_type.hpp>
#include <boost/serialization/level.hpp>
#include <boost/serialization/library_version_type.hpp>
#include <boost/serialization/string.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_serialize.hpp>

#include <filesystem>
#include <string>

BOOST_CLASS_IMPLEMENTATION(boost::filesystem::path, boost::serialization::primitive_type)
BOOST_CLASS_IMPLEMENTATION(std::filesystem::path, boost::serialization::primitive_type)
