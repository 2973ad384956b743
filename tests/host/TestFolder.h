// A folder of one test's own for the files that it writes: tests run beside each other, and so do whole test runs, and a
// name that two of them share is one file that each overwrites under the other.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

// Made empty under the folder for temporary files, and removed with all that is in it.
class TestFolder {
public:
    TestFolder() : Path(testing::TempDir() + "ventara-test-XXXXXX")
    {
        if (mkdtemp(Path.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder like " + Path);
        }
    }
    ~TestFolder()
    {
        std::error_code Ignored; // a folder left behind fails no test
        std::filesystem::remove_all(Path, Ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    // The path of a file in it, which need not exist.
    std::string File(const std::string& Name) const { return Path + '/' + Name; }

private:
    std::string Path;
};
