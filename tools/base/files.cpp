#include "tools/base/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include "desk/base/error.h"

namespace qz::tool {

using namespace desk;

void file_closer::operator()(FILE *file) const
{
    if (file != stdin && file != stdout)
        static_cast<void>(std::fclose(file));
}

std::string input_name(const std::string &file)
{
    return file == "-" ? "standard input" : file;
}

byte_buffer read_file(const std::string &file)
{
    const file_handle handle(file == "-" ? stdin : std::fopen(file.c_str(), "rb"));
    if (!handle)
        desk::fail({file, "", fmt::format("cannot be opened: {}", std::strerror(errno)), ""});

    byte_buffer bytes;
    constexpr size_t chunk = 65536;
    size_t count = chunk;
    while (count == chunk) {
        const size_t size = bytes.size();
        bytes.resize(size + chunk);
        count = std::fread(bytes.data() + size, 1, chunk, handle.get());
        bytes.resize(size + count);
    }
    if (std::ferror(handle.get()) != 0)
        desk::fail({input_name(file), "", fmt::format("cannot be read: {}", std::strerror(errno)), ""});
    return bytes;
}

} // namespace qz::tool
