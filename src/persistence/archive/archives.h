#pragma once

// For the source files of persisted classes only: both archives, and how the engine stores what the classes are made
// of. It is a heavy header; a class's own header needs persistence/archive/persistent.h and no more.

#include "persistence/archive/eigen_serialization.h"
#include "persistence/archive/load_collections.h"
#include "persistence/archive/load_pointers.h"
#include "persistence/archive/optional_serialization.h"
#include "persistence/archive/persistent.h"
#include "persistence/archive/portable_binary_iarchive.h"
#include "persistence/archive/portable_binary_oarchive.h"

#include <boost/serialization/base_object.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/optional.hpp>
#include <boost/serialization/split_member.hpp>
#include <boost/serialization/string.hpp>

/// Compiles the member template `serialize` of a class (its full name) for the two archives, once.
#define KESTREL_INSTANTIATE_SERIALIZE(Class)                                                                           \
  template void Class::serialize<kestrel::portable_binary_oarchive>(kestrel::portable_binary_oarchive&, unsigned int); \
  template void Class::serialize<kestrel::portable_binary_iarchive>(kestrel::portable_binary_iarchive&, unsigned int);
