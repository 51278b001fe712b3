/** How a setter refuses a value. */
#ifndef SUPPORT_REFUSE_H
#define SUPPORT_REFUSE_H

/** Throws the result code. Always inlined, like the checks that call it: a throw costs by the frames that it passes. */
[[noreturn, gnu::always_inline]] inline void refuse(int code) { throw code; }

#endif
