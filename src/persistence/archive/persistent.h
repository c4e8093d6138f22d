#pragma once

// What the header of a persisted class needs: its class version, its tracking level and the name it is exported under
// (BOOST_CLASS_VERSION, BOOST_CLASS_TRACKING, BOOST_CLASS_EXPORT_KEY2), and access for the engine to a private
// `serialize`. All of them are part of the file format.
//
// The class declares
//
//   friend class boost::serialization::access;
//   template <class Archive> void serialize(Archive& archive, unsigned int version);
//
// Its source file includes persistence/archive/archives.h, defines `serialize`, instantiates it for the two archives
// with KESTREL_INSTANTIATE_SERIALIZE, and, for a class that is stored through a pointer to its base, implements the
// export with BOOST_CLASS_EXPORT_IMPLEMENT. So the templates of the engine are compiled once for each class.

#include <boost/serialization/access.hpp>
#include <boost/serialization/export.hpp>
#include <boost/serialization/tracking.hpp>
#include <boost/serialization/version.hpp>
