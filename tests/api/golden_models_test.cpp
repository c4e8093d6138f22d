#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "golden/read_golden.h"
#include "zor_api.h"

// Which classes are tracked is decided when a program is linked: the shared library, too, writes the golden models.

namespace kestrel::testing {
namespace {

TEST(GoldenShared, ModelsAreReadAndWrittenAgain) {
  for (const char* const name : {"stored_model/built.zor", "stored_model/not_built.zor"}) {
    zor_handle_t handle = nullptr;
    ASSERT_EQ(zor_read_db_file(&handle, CommittedPath(name).c_str()), zor_success) << name;
    void* buffer = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(zor_write_db_buf(handle, &buffer, &size), zor_success) << name;
    const std::string bytes(static_cast<const char*>(buffer), size);
    zor_release_buf(buffer);
    zor_release(handle);
    EXPECT_TRUE(WithoutStamps(bytes) == WithoutStamps(Committed(name))) << name;
  }
}

}  // namespace
}  // namespace kestrel::testing
