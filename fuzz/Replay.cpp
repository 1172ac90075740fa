#include <cstdio>
#include <fstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

// Runs a fuzzer over a checked-in corpus: one input a line, in which "\\" is a backslash and "\xNN"
// a byte.

int main(int argc, char **argv) {
    std::ifstream corpus(argc > 1 ? argv[1] : "");
    std::string line;
    int count = 0;
    for (; std::getline(corpus, line); ++count) {
        std::string input;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] != '\\') {
                input += line[i];
            } else if (line.at(i + 1) == '\\') {
                input += '\\';
                ++i;
            } else {
                input += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16));
                i += 3;
            }
        }
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(input.data()), input.size());
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
