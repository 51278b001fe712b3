/* Read-only and on separate pages, so that the image uses no memory until it is read. */

#ifdef __CET__
#include <cet.h> /* marks this object as compatible with control flow protection */
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
