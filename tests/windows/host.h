// What the tests of the loaded module share: files of their own, the boxes that the module showed, other
// programs.

#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "framework/framework.h"

namespace windows_test {

// A folder of the test's own, gone with it.
class Folder {
  public:
    Folder() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = "vemrado-" + std::to_string(GetCurrentProcessId()) + "-" + info->name();
        path = (std::filesystem::temp_directory_path() / name).string();
        std::filesystem::create_directories(path);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    // Names are in the system's code page.
    std::string Path(const std::string& name) const { return path + "\\" + name; }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }

  private:
    std::string path;
};

// Takes the module's message boxes while it lives.
class Boxes {
  public:
    Boxes() { FrameworkSetMessageBoxHandler(Take, this); }
    Boxes(const Boxes&) = delete;
    Boxes& operator=(const Boxes&) = delete;
    ~Boxes() { FrameworkSetMessageBoxHandler(nullptr, nullptr); }

    std::vector<std::string> texts;
    unsigned int lastStyle = 0;

  private:
    static int Take(void* context, const char* text, unsigned int style) {
        auto* boxes = static_cast<Boxes*>(context);
        boxes->texts.push_back(text);
        boxes->lastStyle = style;
        return IDOK;
    }
};

inline std::string MapOfLines(int count) {
    std::string text = "&V 0 0 0\n&R 0 0 0 0 1000 a\n&U 1\n";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += "&L L " + number + ".25 " + number + ".5 K=1\nL " + number + " 7\n";
    }
    return text + "&K\n";
}

// A path of the building system as Windows has it.
inline std::string SystemPath(const char* path) {
    char full[MAX_PATH];
    GetFullPathNameA(path, MAX_PATH, full, nullptr);
    return full;
}

// Beside this program.
inline std::string Beside(const std::string& name) {
    char own[MAX_PATH];
    GetModuleFileNameA(nullptr, own, MAX_PATH);
    return (std::filesystem::path(own).parent_path() / name).string();
}

struct RunResult {
    DWORD exitCode = STILL_ACTIVE;
    std::string output;
};

// Runs a program to its end.
inline RunResult RunProgram(const Folder& folder, const std::string& commandLine) {
    const std::string outputName = folder.Path("output.txt");
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE output = CreateFileA(outputName.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    std::string arguments = commandLine;
    RunResult result;
    if (CreateProcessA(nullptr, arguments.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process)) {
        WaitForSingleObject(process.hProcess, 60000);
        GetExitCodeProcess(process.hProcess, &result.exitCode);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    }
    CloseHandle(output);
    std::ostringstream text;
    text << std::ifstream(outputName, std::ios::binary).rdbuf();
    result.output = text.str();
    return result;
}

}  // namespace windows_test
