#include "platform/host/Folder.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/host/HostText.h"

namespace {

struct OPEN_FILE {
    EFI_FILE_PROTOCOL Protocol; // first, as above
    std::string Path;
    FILE* File; // null: the folder itself, or a file that was there
};

OPEN_FILE* Of(EFI_FILE_PROTOCOL* Protocol) { return reinterpret_cast<OPEN_FILE*>(Protocol); }

EFI_STATUS StatusOf(int Error)
{
    switch (Error) {
    case ENOENT:
        return EFI_NOT_FOUND;
    case EEXIST:
    case EACCES:
    case EPERM:
        return EFI_ACCESS_DENIED;
    case EROFS:
        return EFI_WRITE_PROTECTED;
    case ENOSPC:
    case EDQUOT:
        return EFI_VOLUME_FULL;
    default:
        return EFI_DEVICE_ERROR;
    }
}

EFI_FILE_PROTOCOL* NewFile(const std::string& Path, FILE* File);

EFI_STATUS Open(EFI_FILE_PROTOCOL* This, EFI_FILE_PROTOCOL** NewHandle, const CHAR16* Name, UINT64 Mode, UINT64)
{
    if (Of(This)->File != nullptr || NewHandle == nullptr || Name == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const std::string Path = Of(This)->Path + "/" + ToUtf8(Name);
    const bool Creates = (Mode & EFI_FILE_MODE_CREATE) != 0;
    FILE* File = Creates ? std::fopen(Path.c_str(), "wbx") : nullptr;
    struct stat Info; // of a link itself: one that leads nowhere takes its name, too
    if (Creates ? File == nullptr : lstat(Path.c_str(), &Info) != 0) {
        return StatusOf(errno);
    }
    *NewHandle = NewFile(Path, File);
    return EFI_SUCCESS;
}

// A full disk may show only here.
EFI_STATUS Close(EFI_FILE_PROTOCOL* This)
{
    const bool Good = Of(This)->File == nullptr || std::fclose(Of(This)->File) == 0;
    const EFI_STATUS Status = Good ? EFI_SUCCESS : StatusOf(errno);
    delete Of(This);
    return Status;
}

EFI_STATUS Delete(EFI_FILE_PROTOCOL* This)
{
    const std::string Path = Of(This)->Path;
    (void)Close(This);
    return unlink(Path.c_str()) == 0 ? EFI_SUCCESS : StatusOf(errno);
}

EFI_STATUS Write(EFI_FILE_PROTOCOL* This, UINTN* Size, const VOID* Buffer)
{
    if (Of(This)->File == nullptr || Size == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const UINTN Asked = *Size;
    *Size = std::fwrite(Buffer, 1, Asked, Of(This)->File);
    return *Size == Asked ? EFI_SUCCESS : StatusOf(errno);
}

EFI_STATUS Flush(EFI_FILE_PROTOCOL* This)
{
    return Of(This)->File != nullptr && std::fflush(Of(This)->File) == 0 ? EFI_SUCCESS : StatusOf(errno);
}

EFI_FILE_PROTOCOL* NewFile(const std::string& Path, FILE* File)
{
    auto* Opened = new OPEN_FILE{.Protocol = {}, .Path = Path, .File = File};
    Opened->Protocol = {.Revision = 0x00010000,
                        .Open = Open,
                        .Close = Close,
                        .Delete = Delete,
                        .Read = [](auto...) -> EFI_STATUS { return EFI_UNSUPPORTED; },
                        .Write = Write,
                        .GetPosition = nullptr,
                        .SetPosition = nullptr,
                        .GetInfo = [](auto...) -> EFI_STATUS { return EFI_UNSUPPORTED; },
                        .SetInfo = nullptr,
                        .Flush = Flush};
    return &Opened->Protocol;
}

} // namespace

FOLDER::FOLDER(const std::string& ThePath)
    : FileSystem{.Revision = 0x00010000,
                 .OpenVolume =
                     [](EFI_SIMPLE_FILE_SYSTEM_PROTOCOL* This, EFI_FILE_PROTOCOL** Root) {
                         *Root = NewFile(reinterpret_cast<FOLDER*>(This)->Path, nullptr);
                         return EFI_SUCCESS;
                     }},
      Path(ThePath)
{
}
