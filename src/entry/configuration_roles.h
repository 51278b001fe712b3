/** The role of a parameter in a configuration file. */
#ifndef ENTRY_CONFIGURATION_ROLES_H
#define ENTRY_CONFIGURATION_ROLES_H

#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

class FgLoomWrapperImpl;

/** A variable that a load fills before any setter runs, or none. */
using StoredMember = std::variant<std::monostate, std::uint32_t FgLoomWrapperImpl::*,
                                  double FgLoomWrapperImpl::*, std::string FgLoomWrapperImpl::*>;

struct FileRole {
    bool saved = false;
    bool required = false;     // a load without the key fails in the end
    bool storesSource = false; // into the variable that a get reads
    bool applied = false;      // then through the setter
    StoredMember member = {};
};

namespace file_roles {

inline constexpr FileRole NotSaved{};
/** Only informs the reader of the file. */
inline constexpr FileRole SavedOnly{.saved = true};
/** Without effect, but the key must be there. */
inline constexpr FileRole Ignored{.saved = true, .required = true};
/** Takes effect through the setter of another parameter. */
inline constexpr FileRole Stored{.saved = true, .required = true, .storesSource = true};
/** As `Stored`, but in another variable, which holds the value as requested. */
consteval FileRole StoredIn(StoredMember member) {
    return {.saved = true, .required = true, .member = member};
}
/**
 * Through the setter only: it sets something other than a plain variable, or a variable that must only hold
 * accepted values.
 */
inline constexpr FileRole Applied{.saved = true, .required = true, .applied = true};
/** The setters of its neighbours see the new value as well, even one that its own setter then refuses. */
inline constexpr FileRole StoredAndApplied{
    .saved = true, .required = true, .storesSource = true, .applied = true};

} // namespace file_roles

/** The role with the variable that it stores into. */
template <auto source> constexpr FileRole withMember(FileRole role) {
    if (!role.storesSource) return role;
    if constexpr (std::is_constructible_v<StoredMember, decltype(source)>)
        return {role.saved, role.required, role.storesSource, role.applied, source};
    else
        throw "nothing to store into"; // in a constant expression: does not compile
}

#endif
