#pragma once

#include "persistence/archive/archives.h"
#include "support/linear_algebra.h"

#include <memory>
#include <string>
#include <vector>

/// Records for the tests of the archive: one with every kind of content, and a small family behind an abstract base.
namespace kestrel::testing {

/// Version 3, tracked always, by value.
struct Cell {
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  unsigned read_version = 0;
  double value = 0.0;
};

struct Shape {
  virtual ~Shape() = default;
  virtual double Area() const = 0;
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  std::string name;
};

struct Square : Shape {
  double Area() const override { return side * side; }
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  double side = 0.0;
  std::shared_ptr<Shape> next;
};

struct Disc : Shape {
  double Area() const override { return 3.0 * radius * radius; }
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  double radius = 0.0;
};

/// Exported, but no Shape.
struct Stranger {
  virtual ~Stranger() = default;
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  int number = 0;
};

struct Mixed {
  template <class Archive>
  void serialize(Archive& archive, unsigned version);

  std::vector<double> numbers;
  std::vector<Cell> cells;
  std::list<std::wstring> texts;
  std::map<std::string, Cell> cell_map;
  std::set<int> set;
  boost::unordered_set<int> hash_set;
  std::vector<bool> flags;
  boost::dynamic_bitset<> bits;
  boost::optional<Cell> boost_optional;
  std::optional<double> optional;
  boost::variant<int, std::string, Cell> variant;
  math::Matrix matrix;
  math::Vector vector;
  math::IndexVector indices;
  std::shared_ptr<Shape> shape;
  std::shared_ptr<Shape> same_shape;
  boost::shared_ptr<Disc> boost_disc;
  std::unique_ptr<Stranger> owned;
};

/// A Mixed with something in every field.
Mixed MakeMixed();

}  // namespace kestrel::testing

BOOST_CLASS_VERSION(kestrel::testing::Cell, 3)
BOOST_CLASS_TRACKING(kestrel::testing::Cell, boost::serialization::track_always)
BOOST_SERIALIZATION_ASSUME_ABSTRACT(kestrel::testing::Shape)
BOOST_CLASS_EXPORT_KEY2(kestrel::testing::Square, "test::Square")
BOOST_CLASS_EXPORT_KEY2(kestrel::testing::Disc, "test::Disc")
BOOST_CLASS_EXPORT_KEY2(kestrel::testing::Stranger, "test::Stranger")
