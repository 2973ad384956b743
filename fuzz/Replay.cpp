// In the place of the fuzzing engine: plays the inputs in a folder, each in a process of its own.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size);

namespace {

bool ReadFile(const std::string& Path, std::vector<uint8_t>& Content)
{
    FILE* const File = std::fopen(Path.c_str(), "rb");
    if (File == nullptr) {
        return false;
    }
    uint8_t Part[4096];
    for (size_t Read; (Read = std::fread(Part, 1, sizeof(Part), File)) != 0;) {
        Content.insert(Content.end(), Part, Part + Read);
    }
    return std::fclose(File) == 0;
}

} // namespace

int main(int Count, char** Arguments)
{
    DIR* const Folder = Count == 2 ? opendir(Arguments[1]) : nullptr;
    if (Folder == nullptr) {
        std::fprintf(stderr, "usage: %s FOLDER\n", Arguments[0]);
        return 2;
    }
    int Played = 0;
    int Broke = 0;
    while (const dirent* Entry = readdir(Folder)) {
        const std::string Path = std::string(Arguments[1]) + "/" + Entry->d_name;
        if (Entry->d_name[0] == '.') {
            continue;
        }
        Played++;
        const pid_t Child = fork();
        if (Child == 0) {
            std::vector<uint8_t> Content;
            _exit(ReadFile(Path, Content) ? LLVMFuzzerTestOneInput(Content.data(), Content.size()) : 2);
        }
        int Status = 0;
        if (Child < 0 || waitpid(Child, &Status, 0) != Child || Status != 0) {
            std::fprintf(stderr, "%s broke it\n", Path.c_str());
            Broke++;
        }
    }
    closedir(Folder);
    std::printf("%d inputs, %d broke it\n", Played, Broke);
    return Played == 0 || Broke != 0;
}
