/** Names of the producer and its modules. */
#ifndef PRODUCER_DEVICE_IDENTITY_H
#define PRODUCER_DEVICE_IDENTITY_H

namespace producer {

inline constexpr const char* vendorName = "NorvaneImaging";
inline constexpr const char* modelName = "Grab_TwinLaneLineColor";
inline constexpr const char* producerVersion = PRODUCER_VERSION;
inline constexpr const char* transportType = "CLHS";

} // namespace producer

#endif
