/** Numbers of addresses and events as text. */
#ifndef PRODUCER_BASE_HEXADECIMAL_H
#define PRODUCER_BASE_HEXADECIMAL_H

#include <cstdint>
#include <string>

namespace producer {

/** Without a prefix, in lower case. */
std::string hexadecimal(std::uint64_t number);
/** The same, with an even number of digits, as numbers of events are written. */
std::string wholeBytes(std::uint64_t number);

} // namespace producer

#endif
