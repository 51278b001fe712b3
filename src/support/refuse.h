/** How a setter refuses a value. */
#ifndef SUPPORT_REFUSE_H
#define SUPPORT_REFUSE_H

/** Throws the result code. Inlined whole, like the checks that call it: the cost of a throw is the frames that it passes. */
[[noreturn, gnu::always_inline]] inline void refuse(int code) { throw code; }

#endif
