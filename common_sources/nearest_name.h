// The name that somebody meant who wrote another one. Pure, any thread.
#pragma once

#include <span>
#include <string_view>

// The most similar of the names, letter case aside: one that a few added, missing or wrong letters turn into `written`.
// Empty when none is near enough to be meant.
std::string_view nearestName(std::string_view written, std::span<const std::string_view> names);
