# The table of generations by which a boot loader can revoke signed images: the text and nothing behind it, since its
# readers take the section's virtual size as the text's length.
    .section .sbat, "dr"
    .incbin VENTARA_SBAT_FILE
