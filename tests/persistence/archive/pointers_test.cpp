#include "persistence/archive/round_trip.h"
#include "persistence/archive/test_records.h"
#include "support/plain_archive_reader.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

using ShapePointer = std::shared_ptr<Shape>;

TEST(ArchivePointers, StoreClassNamePreambleAndObjectOnce) {
  ShapePointer disc = std::make_shared<Disc>();
  const std::string bytes = Write(std::vector<ShapePointer>{disc, disc, nullptr}, kNoHeader);
  PlainArchiveReader reader(bytes);
  EXPECT_EQ(reader.ReadRaw(8), Bytes("0000 0000 0300 0100")) << "the vector; shared pointers are of version 1";
  EXPECT_EQ(reader.ReadRaw(6), Bytes("0000 0100 0200")) << "preamble of the shared pointer, class 2 is new";
  EXPECT_EQ(reader.ReadString(), "test::Disc");
  EXPECT_EQ(reader.ReadRaw(6), Bytes("0100 0000 0000")) << "tracked, version 0, object 0";
  EXPECT_EQ(reader.ReadRaw(4), Bytes("0000 0000")) << "the base part, an object of its own class";
  EXPECT_EQ(reader.ReadString(), "");
  EXPECT_EQ(reader.ReadDouble(), 0.0);
  EXPECT_EQ(reader.ReadRaw(4), Bytes("0200 0000")) << "class 2, object 0 once more";
  EXPECT_EQ(reader.ReadRaw(2), Bytes("ff7f")) << "null";
  EXPECT_TRUE(reader.AtEnd());
}

TEST(ArchivePointers, PlainReaderFollowsThem) {
  PlainArchiveReader reader(Write(MakeMixed().shape));
  reader.ReadHeader();
  reader.BeginObject("shared_ptr<Shape>");
  EXPECT_EQ(reader.Expect("px").BeginPointer("").class_key, "test::Square");
  reader.Expect("Shape").BeginObject("Shape");
  EXPECT_EQ(reader.Expect("name_").ReadString(), "square");
  EXPECT_EQ(reader.Expect("side_").ReadDouble(), 2.0);
  reader.Expect("next_").BeginObject("shared_ptr<Shape>");
  EXPECT_EQ(reader.Expect("px").BeginPointer("").class_key, "test::Disc");
  reader.Expect("Shape").BeginObject("Shape");
  EXPECT_EQ(reader.Expect("name_").ReadString(), "");
  EXPECT_EQ(reader.Expect("radius_").ReadDouble(), 0.0);
  EXPECT_TRUE(reader.AtEnd());
}

TEST(ArchivePointers, SharedOnesShareAndOutliveTheArchive) {
  const ShapePointer disc = std::make_shared<Disc>();
  const auto read = Read<std::vector<ShapePointer>>(Write(std::vector<ShapePointer>{disc, disc}));
  EXPECT_EQ(read[0], read[1]);
  EXPECT_EQ(read[0].use_count(), 2);
  EXPECT_NE(dynamic_cast<Disc*>(read[0].get()), nullptr);
}

/// Bytes of a vector of shared pointers to shapes whose second pointer is `second`; the first is a disc, class 2,
/// object 0.
std::string TwoShapes(const std::string& second) {
  const std::string disc = "0a00 746573743a3a44697363 0100 0000 0000 0000 0000 0000 0000000000000000";
  return Bytes("0000 0000 0200 0100 0000 0100 0200" + disc + second);
}

TEST(ArchivePointers, RefuseWhatDoesNotFitTheTables) {
  const struct {
    const char* fault;
    const char* second;
    boost::archive::archive_exception::exception_code code;
  } cases[] = {
      {"a class number far beyond", "ff3f", boost::archive::archive_exception::input_stream_error},
      {"a negative class number", "fe7f", boost::archive::archive_exception::input_stream_error},
      {"the class of the vector", "0000 0000", boost::archive::archive_exception::unregistered_class},
      {"an abstract class", "0300", boost::archive::archive_exception::unregistered_class},
      {"an unknown class name", "0400 0100 61", boost::archive::archive_exception::unregistered_class},
      {"an empty class name", "0400 0000", boost::archive::archive_exception::unregistered_class},
      {"a known class as a new one", "0400 0a00 746573743a3a44697363",
       boost::archive::archive_exception::input_stream_error},
      {"an object number out of order", "0200 0200", boost::archive::archive_exception::input_stream_error},
      {"an object of another class", "0400 0c00 746573743a3a537175617265 0100 0000 0000",
       boost::archive::archive_exception::input_stream_error},
      {"a class that is no shape", "0400 0e00 746573743a3a537472616e676572 0100 0000 0100 0000",
       boost::archive::archive_exception::unregistered_class},
  };
  EXPECT_EQ(Read<std::vector<ShapePointer>>(TwoShapes("0200 0000"), kNoHeader).size(), 2U);
  for (const auto& c : cases) {
    try {
      Read<std::vector<ShapePointer>>(TwoShapes(c.second), kNoHeader);
      ADD_FAILURE() << c.fault << " was accepted";
    } catch (const boost::archive::archive_exception& error) {
      EXPECT_EQ(error.code, c.code) << c.fault;
    }
  }
}

TEST(ArchivePointers, RefuseClassNamesThatAreTooLong) {
  const std::string longest(127, 'a');
  const std::string too_long(128, 'a');
  const auto refusal = [](const std::string& name) {
    try {
      Read<ShapePointer>(Bytes("0000 0100 0100") + Write(name, kNoHeader), kNoHeader);
    } catch (const boost::archive::archive_exception& error) {
      return error.code;
    }
    return boost::archive::archive_exception::no_exception;
  };
  EXPECT_EQ(refusal(longest), boost::archive::archive_exception::unregistered_class);
  EXPECT_EQ(refusal(too_long), boost::archive::archive_exception::invalid_class_name);
}

struct ValueThenPointer {
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("value_", value) & boost::serialization::make_nvp("pointer_", pointer);
  }
  Disc value;
  std::shared_ptr<Disc> pointer;
};

TEST(ArchivePointers, NeverOwnAnObjectTwice) {
  // an alias of a member: the bytes say that the pointer leads to the value that was stored before
  ValueThenPointer written;
  written.pointer = std::shared_ptr<Disc>(std::shared_ptr<void>(), &written.value);
  EXPECT_THROW(Read<ValueThenPointer>(Write(written)), boost::archive::archive_exception);

  // two unique pointers to one object, as a pair of shared ones writes them but for the preamble
  using SharedPair = std::pair<std::shared_ptr<Disc>, std::shared_ptr<Disc>>;
  using UniquePair = std::pair<std::unique_ptr<Disc>, std::unique_ptr<Disc>>;
  using MixedPair = std::pair<std::shared_ptr<Disc>, boost::shared_ptr<Disc>>;
  const auto disc = std::make_shared<Disc>();
  const std::string bytes = Write(SharedPair(disc, disc), kNoHeader);
  EXPECT_EQ(Read<SharedPair>(bytes, kNoHeader).first.use_count(), 2);
  EXPECT_THROW(Read<UniquePair>(bytes, kNoHeader), boost::archive::archive_exception);
  EXPECT_THROW(Read<MixedPair>(bytes, kNoHeader), boost::archive::archive_exception);
}

TEST(ArchivePointers, NeverLetAnObjectOwnItself) {
  const auto square = std::make_shared<Square>();
  square->next = square;
  const std::string bytes = Write(std::shared_ptr<Shape>(square));
  square->next.reset();
  EXPECT_THROW(Read<std::shared_ptr<Shape>>(bytes), boost::archive::archive_exception);
}

TEST(ArchivePointers, EndAtTheDeepestNesting) {
  const auto chain = [](unsigned length) {
    std::shared_ptr<Shape> first;
    for (unsigned i = 0; i < length; ++i) {
      auto square = std::make_shared<Square>();
      square->next = first;
      first = square;
    }
    return Write(first);
  };
  // each square stands within its shared pointer, and that within the square before
  EXPECT_NO_THROW(Read<std::shared_ptr<Shape>>(chain(portable_binary_iarchive::kDeepestNesting / 2 - 1)));
  EXPECT_THROW(Read<std::shared_ptr<Shape>>(chain(portable_binary_iarchive::kDeepestNesting)),
               boost::archive::archive_exception);
}

}  // namespace
}  // namespace kestrel::testing
