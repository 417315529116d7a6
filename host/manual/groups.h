// The descriptions of each group; descriptions.cpp puts the groups in order.
#pragma once

#include "host/manual/description.h"

namespace host {

std::span<const Description> toneMembers();
std::span<const Description> colorMembers();
std::span<const Description> channelMembers();
std::span<const Description> maskMembers();
std::span<const Description> searchMembers();
std::span<const Description> scrollingMembers();
std::span<const Description> filterMembers();
std::span<const Description> waveformMembers();
std::span<const Description> dataExchangeMembers();

}  // namespace host
