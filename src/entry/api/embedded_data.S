/* On pages of its own and read-only, so that the image costs no memory until it is read. */

#ifdef __CET__
#include <cet.h> /* the mark that this object holds nothing against control flow protection */
#endif

        .section .rodata.design, "a", @progbits
        .balign 4096
        .globl appletDesignImage
        .hidden appletDesignImage
        .globl appletDesignImageEnd
        .hidden appletDesignImageEnd
appletDesignImage:
        .incbin DESIGN_IMAGE_FILE
appletDesignImageEnd:

        .section .rodata.icon, "a", @progbits
        .globl appletIcon
        .hidden appletIcon
        .globl appletIconEnd
        .hidden appletIconEnd
appletIcon:
        .incbin ICON_FILE
appletIconEnd:

        .section .note.GNU-stack, "", @progbits
