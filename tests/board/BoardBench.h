// A firmware just large enough for the board services: pool with a count of what is out, the protocols installed, a
// display of 1024 by 768 pixels and a font that draws every character as a block in a cell of 8 by 19.
#pragma once

#include "platform/board/BoardServices.h"
#include "uefi/Hii.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

inline bool SameGuid(const EFI_GUID& A, const EFI_GUID& B) { return std::memcmp(&A, &B, sizeof(A)) == 0; }

inline UINT32 Rgb(const PIXEL& Pixel)
{
    return (UINT32{Pixel.Red} << 16) | (UINT32{Pixel.Green} << 8) | Pixel.Blue;
}

struct BOARD_BENCH {
    static constexpr UINTN Width = 1024;
    static constexpr UINTN Height = 768;
    static constexpr UINT32 Untouched = 0x123456;

    EFI_SYSTEM_TABLE SystemTable = {};
    EFI_BOOT_SERVICES BootServices = {};
    EFI_GRAPHICS_OUTPUT_PROTOCOL Display = {};
    EFI_HII_FONT_PROTOCOL Font = {};
    std::vector<PIXEL> Pixels;
    std::vector<std::pair<EFI_GUID, VOID*>> Installed;
    std::vector<std::u16string> Texts; // given to the font
    INT64 PoolBlocks = 0;
    UINTN BltCalls = 0;
    bool BltOutside = false;
    bool FailPool = false;
    bool HasFont = true;
    // The picture the font gives: of the text's own size, or wide with the text's size in the row information.
    bool WidePictures = true;

    BOARD_BENCH() {
        Current = this;
        Wipe();
        BootServices.AllocatePool = Allocate;
        BootServices.FreePool = Free;
        BootServices.LocateProtocol = Locate;
        BootServices.InstallMultipleProtocolInterfaces = InstallMultiple;
        BootServices.UninstallMultipleProtocolInterfaces = UninstallMultiple;
        SystemTable.BootServices = &BootServices;
        Display.Blt = Blt;
        Font.StringToImage = StringToImage;
    }
    ~BOARD_BENCH() { Current = nullptr; }
    BOARD_BENCH(const BOARD_BENCH&) = delete;
    BOARD_BENCH& operator=(const BOARD_BENCH&) = delete;

    // Every pixel of the display to Untouched.
    void Wipe() {
        Pixels.assign(Width * Height, PIXEL{.Blue = 0x56, .Green = 0x34, .Red = 0x12, .Reserved = 0});
    }

    UINT32 At(UINTN X, UINTN Y) const { return Rgb(Pixels[Y * Width + X]); }

    template <typename T> T* Find(const EFI_GUID& Guid) {
        for (auto& [Installed1, Interface] : Installed) {
            if (SameGuid(Installed1, Guid)) {
                return static_cast<T*>(Interface);
            }
        }
        return nullptr;
    }

private:
    static inline BOARD_BENCH* Current = nullptr;

    static EFI_STATUS Allocate(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer) {
        if (Current->FailPool) {
            return EFI_OUT_OF_RESOURCES;
        }
        *Buffer = std::malloc(Size);
        Current->PoolBlocks++;
        return EFI_SUCCESS;
    }

    static EFI_STATUS Free(VOID* Buffer) {
        std::free(Buffer);
        Current->PoolBlocks--;
        return EFI_SUCCESS;
    }

    static EFI_STATUS Locate(const EFI_GUID* Guid, VOID*, VOID** Interface) {
        if (SameGuid(*Guid, gEfiGraphicsOutputProtocolGuid)) {
            *Interface = &Current->Display;
            return EFI_SUCCESS;
        }
        if (SameGuid(*Guid, gEfiHiiFontProtocolGuid) && Current->HasFont) {
            *Interface = &Current->Font;
            return EFI_SUCCESS;
        }
        return EFI_NOT_FOUND;
    }

    static EFI_STATUS InstallMultiple(EFI_HANDLE* Handle, ...) {
        std::va_list Arguments;
        va_start(Arguments, Handle);
        while (const auto* Guid = va_arg(Arguments, const EFI_GUID*)) {
            Current->Installed.emplace_back(*Guid, va_arg(Arguments, VOID*));
        }
        va_end(Arguments);
        *Handle = Current;
        return EFI_SUCCESS;
    }

    static EFI_STATUS UninstallMultiple(EFI_HANDLE Handle, ...) {
        std::va_list Arguments;
        va_start(Arguments, Handle);
        while (const auto* Guid = va_arg(Arguments, const EFI_GUID*)) {
            VOID* Interface = va_arg(Arguments, VOID*);
            std::erase_if(Current->Installed, [&](const auto& Entry) {
                return SameGuid(Entry.first, *Guid) && Entry.second == Interface;
            });
        }
        va_end(Arguments);
        return EFI_SUCCESS;
    }

    static EFI_STATUS Blt(EFI_GRAPHICS_OUTPUT_PROTOCOL*, PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation,
                          UINTN SourceX, UINTN SourceY, UINTN X, UINTN Y, UINTN Columns, UINTN Rows, UINTN Delta) {
        Current->BltCalls++;
        if (X + Columns > Width || Y + Rows > Height || Columns == 0 || Rows == 0) {
            Current->BltOutside = true;
            return EFI_INVALID_PARAMETER;
        }
        const UINTN Stride = Delta == 0 ? Columns : Delta / sizeof(PIXEL);
        for (UINTN Row = 0; Row < Rows; Row++) {
            for (UINTN Column = 0; Column < Columns; Column++) {
                Current->Pixels[(Y + Row) * Width + X + Column] =
                    Operation == EfiBltVideoFill ? *Buffer : Buffer[(SourceY + Row) * Stride + SourceX + Column];
            }
        }
        return EFI_SUCCESS;
    }

    static EFI_STATUS StringToImage(const EFI_HII_FONT_PROTOCOL*, EFI_HII_OUT_FLAGS, const CHAR16* String,
                                    const EFI_FONT_DISPLAY_INFO* Info, EFI_IMAGE_OUTPUT** Image, UINTN, UINTN,
                                    EFI_HII_ROW_INFO** Rows, UINTN* RowCount, UINTN*) {
        const std::u16string Text = String;
        Current->Texts.push_back(Text);
        const UINTN TextWidth = Text.size() * 8;
        const UINTN ImageWidth = Current->WidePictures ? 1200 : TextWidth;
        const UINTN ImageHeight = Current->WidePictures ? 40 : 19;
        VOID* Bitmap = nullptr;
        VOID* Output = nullptr;
        if (EfiError(Allocate(EfiBootServicesData, ImageWidth * ImageHeight * sizeof(PIXEL), &Bitmap))) {
            return EFI_OUT_OF_RESOURCES;
        }
        (void)Allocate(EfiBootServicesData, sizeof(EFI_IMAGE_OUTPUT), &Output);
        auto* Cells = static_cast<PIXEL*>(Bitmap);
        for (UINTN Index = 0; Index < ImageWidth * ImageHeight; Index++) {
            Cells[Index] = PIXEL{.Blue = 0xFF, .Green = 0x00, .Red = 0xFF, .Reserved = 0}; // beyond the text
        }
        for (UINTN Y = 0; Y < 19; Y++) {
            for (UINTN X = 0; X < TextWidth; X++) {
                const bool Letter = Text[X / 8] != u' ' && X % 8 != 7;
                Cells[Y * ImageWidth + X] = Letter ? Info->ForegroundColor : Info->BackgroundColor;
            }
        }
        *Image = static_cast<EFI_IMAGE_OUTPUT*>(Output);
        (*Image)->Width = static_cast<UINT16>(ImageWidth);
        (*Image)->Height = static_cast<UINT16>(ImageHeight);
        (*Image)->Image.Bitmap = Cells;
        if (Rows != nullptr && Current->WidePictures) {
            VOID* Row = nullptr;
            (void)Allocate(EfiBootServicesData, sizeof(EFI_HII_ROW_INFO), &Row);
            *Rows = static_cast<EFI_HII_ROW_INFO*>(Row);
            **Rows = EFI_HII_ROW_INFO{.StartIndex = 0, .EndIndex = Text.size() - 1, .LineHeight = 19,
                                      .LineWidth = TextWidth, .BaselineOffset = 4};
            *RowCount = 1;
        }
        return EFI_SUCCESS;
    }
};
