# The artwork pack as the build made it, and its size.
    .section .rdata, "dr"
    .balign 16
    .globl gArtworkPack
gArtworkPack:
    .incbin VENTARA_ARTWORK_PACK
gArtworkPackEnd:
    .balign 8
    .globl gArtworkPackSize
gArtworkPackSize:
    .quad gArtworkPackEnd - gArtworkPack
