#include "platform/host/ImageLoader.h"

#include <dlfcn.h>
#include <unistd.h>

namespace {

constexpr const char* gImageName = "libventara-console.so";
constexpr const char* gEntryPoint = "_ModuleEntryPoint";

std::string FindProgramFolder()
{
    char Path[4096];
    const ssize_t Length = readlink("/proc/self/exe", Path, sizeof(Path));
    const std::string Program(Path, Length > 0 ? static_cast<size_t>(Length) : 0);
    return Program.substr(0, Program.rfind('/') + 1);
}

bool IsLoaded(const std::string& Path)
{
    VOID* Image = dlopen(Path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (Image == nullptr) {
        return false;
    }
    dlclose(Image);
    return true;
}

} // namespace

std::string FindConsoleImage()
{
    const std::string Folder = FindProgramFolder();
    for (const char* Place : {"", "../lib/ventara/"}) {
        std::string Path = Folder + Place + gImageName;
        if (access(Path.c_str(), R_OK) == 0) {
            return Path;
        }
    }
    return {};
}

VOID* LoadImage(const std::string& Path, IMAGE_ENTRY_POINT* Entry, std::string* Error)
{
    if (IsLoaded(Path)) {
        *Error = Path + " wasn't unloaded after its last start";
        return nullptr;
    }
    VOID* Image = dlopen(Path.c_str(), RTLD_NOW | RTLD_LOCAL);
    VOID* Symbol = Image == nullptr ? nullptr : dlsym(Image, gEntryPoint);
    if (Symbol == nullptr) {
        const char* Reason = dlerror();
        *Error = Reason == nullptr ? Path + " has no entry point" : Reason;
        UnloadImage(Image);
        return nullptr;
    }
    *Entry = reinterpret_cast<IMAGE_ENTRY_POINT>(Symbol);
    return Image;
}

VOID UnloadImage(VOID* Image)
{
    if (Image != nullptr) {
        dlclose(Image);
    }
}
