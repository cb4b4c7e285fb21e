#pragma once

#include <functional>
#include <string>

#include "agent/Agent.hpp"
#include "bus/Interface.hpp"

namespace zelto::agent {

/// The agent's bus name, which is the app's.
inline constexpr std::string_view agentService = "com.kavra.zelto";

/// What others may ask of an agent that is there by the time that they are answered. Its signal `changed`
/// tells what is another: "snapshot", "awake", "clocks" or "care".
bus::Interface agentInterface(const std::function<Agent&()>& agent, std::function<void()> quit);

}  // namespace zelto::agent
