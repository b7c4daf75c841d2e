#include "tools/base/output_file.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <tuple>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "desk/base/error.h"

namespace qz::tool {

namespace fs = std::filesystem;

namespace {

// The file that a signal leaves to be removed; empty: none.
char unfinished[PATH_MAX];

extern "C" void end_interrupted(int number)
{
    remove_unfinished_file();
    static_cast<void>(std::signal(number, SIG_DFL));
    static_cast<void>(std::raise(number));
}

void remove_when_interrupted(const std::string &file)
{
    if (file.size() >= sizeof unfinished)
        return;
    std::memcpy(unfinished, file.c_str(), file.size() + 1);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, end_interrupted) == SIG_IGN)
            static_cast<void>(std::signal(number, SIG_IGN)); // as nohup wants it
    }
}

// Permissions of a file that did not exist before.
mode_t new_file_mode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return (S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH) & ~mask;
}

} // namespace

output_file::output_file(const std::string &file, const std::vector<std::string> &sources)
    : name_(file == "-" ? "standard output" : file), target_(file)
{
    if (file == "-") {
        handle_.reset(stdout);
        return;
    }
    for (const std::string &source : sources) {
        std::error_code absent;
        if (fs::equivalent(source, file, absent))
            desk::fail({file, "", "a file that is read, " + source, "another one to write"});
    }
    open_beside();
    if (beside_.empty())
        handle_.reset(std::fopen(target_.c_str(), "wb"));
    if (!handle_)
        fail("cannot be opened");
}

// Leaves it to the caller where there is a pipe, a device, a file that may not be written, or no room for a new name.
void output_file::open_beside()
{
    std::error_code error;
    const fs::path target = fs::weakly_canonical(target_, error);
    struct stat there = {};
    const bool exists = stat(target_.c_str(), &there) == 0;
    if (error || (exists && (!S_ISREG(there.st_mode) || access(target_.c_str(), W_OK) != 0)))
        return;
    std::string beside = target.string() + ".XXXXXX";
    const int descriptor = mkstemp(beside.data());
    if (descriptor < 0)
        return;
    remove_when_interrupted(beside);
    beside_ = beside;
    target_ = target.string();
    handle_.reset(fdopen(descriptor, "wb"));
    if (!handle_) {
        const int number = errno;
        close(descriptor);
        unlink(beside.c_str());
        errno = number;
        return;
    }
    // Where it cannot be the owner's, or a file system knows no permissions, the file is what it can be.
    if (exists)
        std::ignore = fchown(descriptor, there.st_uid, there.st_gid);
    std::ignore = fchmod(descriptor, exists ? there.st_mode & 07777 : new_file_mode());
}

output_file::~output_file()
{
    if (!beside_.empty())
        unlink(beside_.c_str());
}

void remove_unfinished_file()
{
    unlink(unfinished);
}

void output_file::write(desk::byte_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), handle_.get()) != bytes.size())
        fail("cannot be written");
}

void output_file::finish()
{
    if (std::fflush(handle_.get()) != 0)
        fail("cannot be written");
    if (beside_.empty())
        return;
    if (std::fclose(handle_.release()) != 0)
        fail("cannot be written");
    if (std::rename(beside_.c_str(), target_.c_str()) != 0)
        fail("cannot be replaced");
    beside_.clear();
    unfinished[0] = '\0';
}

void output_file::fail(const char *what) const
{
    const int number = errno;
    if (number == EPIPE)
        throw closed_pipe();
    desk::fail({name_, "", fmt::format("{}: {}", what, std::strerror(number)), ""});
}

void write_file(const std::string &file, desk::byte_view bytes, const std::vector<std::string> &sources)
{
    output_file output(file, sources);
    output.write(bytes);
    output.finish();
}

void write_text(const std::string &file, std::string_view text, const std::vector<std::string> &sources)
{
    write_file(file, {reinterpret_cast<const uint8_t *>(text.data()), text.size()}, sources);
}

} // namespace qz::tool
