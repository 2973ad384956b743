/* The artwork pack as data of the image that this is linked into: gArtworkPack and gArtworkPackSize, for ELF and for
   the firmware's image format. ARTWORK_PACK_PATH names the pack file. */

#ifdef __ELF__
    .section .rodata, "a", @progbits
#else
    .section .rdata, "dr"
#endif
    .balign 16
    .globl gArtworkPack
gArtworkPack:
    .incbin ARTWORK_PACK_PATH
gArtworkPackEnd:
    .balign 8
    .globl gArtworkPackSize
gArtworkPackSize:
    .quad gArtworkPackEnd - gArtworkPack

#ifdef __ELF__
    .section .note.GNU-stack, "", @progbits
#endif
