// Formatted text: into a buffer, or as a line on the console. The output is UTF-16 always; the two buffer operations
// differ in the string that drives them.
//
// A format is text with elements %[flags][width][.precision][l]letter in it. A \n of the format comes out as carriage
// return and line feed, unless a carriage return stands before it already; text that comes from an argument is left
// as it is.
//
//   letter  argument                     output
//   s S     const CHAR16*                the string; "<null string>" for a null pointer
//   a       const CHAR8*                 the string; "<null string>" for a null pointer
//   c       CHAR16                       the character
//   d       INT32, with l INT64          decimal
//   x       UINT32, with l UINT64        hexadecimal in upper case
//   X       UINT32, with l UINT64        the same, filled to the width with zeros
//   p       pointer                      hexadecimal of 64 bits, filled to the width with zeros
//   r       EFI_STATUS                   the status in words, "%08X" of it where there are none
//   g       const EFI_GUID*              8-4-4-4-12 digits; "<null guid>" for a null pointer
//   t       const EFI_TIME*              "%02d/%02d/%04d  %02d:%02d" of month, day, year, hour, minute; "<null time>"
//   other                                the letter itself, and so %% is a percent sign
//
//   flag    effect
//   -       to the left of its width
//   + blank sign or blank before a number that isn't negative (d)
//   0       number filled to the width with zeros, not with - or ,
//   ,       thousands parted by commas (d)
//   *       width, or behind the point precision, is an INT32 argument; a negative width means -
//   l L     64-bit value
//
// The precision is the least number of digits of a number and the greatest number of characters of a text.
#pragma once

#include "uefi/Base.h"

// Formats into Buffer, BufferSize bytes long, and returns the number of characters written, the end mark not counted.
// Output stops one character before the end of the buffer and is always ended by a null character; a buffer that has no
// room even for that one is left alone.
UINTN FormatUnicodeText(CHAR16* Buffer, UINTN BufferSize, const CHAR16* Format, ...);
UINTN FormatAsciiText(CHAR16* Buffer, UINTN BufferSize, const CHAR8* Format, ...);

// Writes at most 320 characters on ConOut. Returns how many, or 0 if the console refused them. Without memory or
// console nothing is printed.
UINTN PrintToConsole(const CHAR16* Format, ...);
