// The public headers are C++ as well, each by itself and in this order.
#include "vexo/register_info.h"

#include "vexo/fg_parameters.h"

#include "vexo/fg_errors.h"

#include "vexo/logging_dispatcher.h"

#include "vexo/board_access.h"

#include "vexo/design_loader.h"

#include "vexo/grabber_runtime.h"

#include "vexo/fg_api.h"

#include <type_traits>

static_assert(std::is_standard_layout_v<RegisterInfo>);
static_assert(std::is_same_v<decltype(&Fg_getEventName), const char* (*)(Fg_Struct*, uint64_t)>);
