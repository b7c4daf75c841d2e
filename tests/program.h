// The program started from outside, in a directory of the test's own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include "tests/desk_suite.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"

struct result {
    int code;
    std::string out;
    std::string err;
};

class program_test : public testing::Test {
  protected:
    program_test()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "qz-isp-XXXXXX").string();
        directory_ = mkdtemp(pattern.data());
    }
    ~program_test() override { std::filesystem::remove_all(directory_); }

    std::string path(const std::string &name) const { return (directory_ / name).string(); }

    std::string text_of(const std::string &name) const
    {
        const qz::desk::byte_buffer bytes = qz::tool::read_file(path(name));
        return {bytes.begin(), bytes.end()};
    }

    void write(const std::string &name, std::string_view text) const { qz::tool::write_text(path(name), text); }

    // Arguments as a shell takes them, in the directory of the test; before: what comes before the program in a pipe.
    result run(const std::string &arguments, const std::string &before = "") const
    {
        const std::string command =
            "cd " + directory_.string() + " && " + before + " " QZ_TOOL_COMMAND " " + arguments + " > out 2> err";
        const int status = std::system(command.c_str()); // NOLINT(cert-env33-c): that is what is tested
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of("out"), text_of("err")};
    }

  private:
    std::filesystem::path directory_;
};
