// The tagged reader where shape files do not lead: values in pieces, records passed over, files without a
// name.

#include "symbols/tagged_file.h"

#include <gtest/gtest.h>

#include "memory_files.h"
#include "shape_bytes.h"

namespace vemrado_test {
namespace {

using namespace vemrado;

TEST(TaggedFile, GivesValuesInPieces) {
    MemoryFiles files;
    files["f"] =
        shapeMagic + "a@=" + Long(6) + "123456b~=" + Long(2) + Long(99) + "xxc%=78d&=9012e@=" + Long(0);
    CTaggedFileReader reader("f", 1);
    CSharedString name;
    int32_t type = 0;
    uint32_t size = 0;
    char value[8] = {};
    EXPECT_EQ(reader.SkipValue(), 0) << "before any record";
    ASSERT_EQ(reader.Rewind(), 1);
    ASSERT_EQ(reader.NextRecord(name, type, size), 1);
    EXPECT_EQ(reader.ReadValue(value, 4), 4u);
    EXPECT_EQ(reader.ReadValue(value + 4, 4), 2u);
    EXPECT_STREQ(value, "123456");
    EXPECT_EQ(reader.ReadValue(value, 4), 0u) << "nothing is left";
    EXPECT_EQ(reader.ReadValue(value, 4), 0u) << "a pair has no value to read";
    EXPECT_EQ(reader.NextRecord(name, type, size), 1);
    EXPECT_STREQ(name.Text(), "c");
    EXPECT_EQ(reader.ReadValue(value, 1), 1u);
    EXPECT_EQ(reader.NextRecord(name, type, size), 1) << "past the rest of the value";
    EXPECT_STREQ(name.Text(), "d");
    EXPECT_EQ(reader.ReadValue(value, 0), 4u);
    EXPECT_EQ(reader.ReadValue(value, 1), 0u) << "an empty value";
    EXPECT_EQ(reader.NextRecord(name, type, size), 0);
}

TEST(TaggedFile, HasNothingWithoutAName) {
    for (const char* path : {static_cast<const char*>(nullptr), ""}) {
        CTaggedFileReader reader(path, 1);
        char value;
        EXPECT_EQ(reader.Check(), taggedFileError);
        EXPECT_EQ(reader.Rewind(), 0);
        EXPECT_EQ(reader.ReadValue(&value, 1), 0u);
    }
}

}  // namespace
}  // namespace vemrado_test
