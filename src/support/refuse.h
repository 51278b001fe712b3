/** How a setter refuses a value. */
#ifndef SUPPORT_REFUSE_H
#define SUPPORT_REFUSE_H

/** Throws the result code. Always inlined, like the checks that call it: each frame makes a throw slower. */
[[noreturn, gnu::always_inline]] inline void refuse(int code) { throw code; }

#endif
