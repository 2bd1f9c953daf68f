// The framework's stand-in, as a host and a module see it.

#include "framework/framework.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Box {
    std::string text;
    unsigned int style;
};

int RecordBox(void* context, const char* text, unsigned int style) {
    static_cast<std::vector<Box>*>(context)->push_back({text, style});
    return 7;
}

TEST(FrameworkTest, AHandlerTakesTheBoxes) {
    std::vector<Box> boxes;
    FrameworkSetMessageBoxHandler(RecordBox, &boxes);
    testing::internal::CaptureStderr();
    EXPECT_EQ(AfxMessageBox("text", frameworkExclamationOk, 0), 7);
    EXPECT_EQ(AfxMessageBox(nullptr, 0, 0), 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    FrameworkSetMessageBoxHandler(nullptr, nullptr);
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].text, "text");
    EXPECT_EQ(boxes[0].style, 48u);
    EXPECT_EQ(boxes[1].text, "");
}

#if !defined(_WIN32)
TEST(FrameworkTest, WithoutAHandlerBoxesAreTextInUtf8) {
    testing::internal::CaptureStderr();
    // Windows-1250 from the module, and a file name that already is UTF-8.
    EXPECT_EQ(AfxMessageBox("\xC8ten\xED: \xC4\x8D\x81", frameworkExclamationOk, 0), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\xC4\x8Cten\xC3\xAD: \xC4\x8D\xEF\xBF\xBD\n");
}
#endif

// The library object of a test module, which tells when the framework deletes it.
class TestLibrary : public CDynLinkLibrary {
  public:
    TestLibrary(AFX_EXTENSION_MODULE* record, int& living) : CDynLinkLibrary(record), count(living) {
        ++count;
    }
    ~TestLibrary() override { --count; }

  private:
    int& count;
};

TEST(FrameworkTest, KeepsTheChainOfModules) {
    const int before = FrameworkModuleCount();
    AFX_EXTENSION_MODULE records[3] = {};
    int living = 0;
    EXPECT_EQ(AfxInitExtensionModule(nullptr, nullptr), 0);
    for (auto& record : records) {
        ASSERT_EQ(AfxInitExtensionModule(&record, &record), 1);
        EXPECT_EQ(record.moduleHandle, &record);
        EXPECT_EQ((new TestLibrary(&record, living))->module, &record);
    }
    EXPECT_EQ(FrameworkModuleCount(), before + 3);
    for (const int index : {1, 0, 2}) {
        AfxTermExtensionModule(&records[index], 0);
        EXPECT_EQ(records[index].library, nullptr);
        AfxTermExtensionModule(&records[index], 0);
    }
    EXPECT_EQ(living, 0);
    EXPECT_EQ(FrameworkModuleCount(), before);
}

TEST(FrameworkTest, ThrowsItsOwnExceptions) {
    EXPECT_THROW(AfxThrowInvalidArgException(), CInvalidArgException);
    EXPECT_THROW(AfxThrowInvalidArgException(), std::invalid_argument);
    try {
        AfxThrowFileException("map.vkm", "Input/output error");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "map.vkm: Input/output error");
        const auto& file = dynamic_cast<const CFileException&>(error);
        EXPECT_EQ(file.FileName(), "map.vkm");
        EXPECT_EQ(file.Reason(), "Input/output error");
    }
}

TEST(FrameworkTest, HostsReplaceItsServices) {
    int pumped = 0;
    FrameworkPumpMessages();
    FrameworkSetPumpHook([](void* context) { ++*static_cast<int*>(context); }, &pumped);
    FrameworkPumpMessages();
    FrameworkSetPumpHook(nullptr, nullptr);
    FrameworkPumpMessages();
    EXPECT_EQ(pumped, 1);

    EXPECT_EQ(FrameworkGetDataDirectory(), nullptr);
    {
        const std::string directory = "D:\\Maps";
        FrameworkSetDataDirectory(directory.c_str());
    }
    EXPECT_STREQ(FrameworkGetDataDirectory(), "D:\\Maps");
    FrameworkSetDataDirectory("");
    EXPECT_STREQ(FrameworkGetDataDirectory(), "");
    FrameworkSetDataDirectory(nullptr);
    EXPECT_EQ(FrameworkGetDataDirectory(), nullptr);

    EXPECT_EQ(FrameworkGetFileProvider(), nullptr);
    {
        const FrameworkFileProvider provider = {&pumped, nullptr, nullptr, nullptr, nullptr};
        FrameworkSetFileProvider(&provider);
    }
    ASSERT_NE(FrameworkGetFileProvider(), nullptr);
    EXPECT_EQ(FrameworkGetFileProvider()->context, &pumped);
    FrameworkSetFileProvider(nullptr);
    EXPECT_EQ(FrameworkGetFileProvider(), nullptr);
}

}  // namespace
