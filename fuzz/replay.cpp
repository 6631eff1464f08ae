// Stands in for the fuzzer: puts each file that it is given, or finds in a folder, through the
// target once. A fault ends it as it would end the fuzzer.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size);

namespace {

void replay(std::filesystem::path const &path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    // The last one that is named here is the one that ended the program.
    std::cout << path.filename().string() << std::endl;
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size());
}

int replayAll(std::filesystem::path const &path)
{
    if (!std::filesystem::is_directory(path)) {
        replay(path);
        return 1;
    }
    int count = 0;
    for (auto const &entry : std::filesystem::directory_iterator(path)) {
        replay(entry.path());
        ++count;
    }
    return count;
}

} // namespace

int main(int argc, char **argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i)
        count += replayAll(argv[i]);
    std::cout << count << " inputs" << std::endl;
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
