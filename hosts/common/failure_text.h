// A reason that the store has noted, in words: where, what, and what to do about it.
#pragma once

#include <string>

#include "hosts/common/host_error.h"
#include "store/place/failure.h"

namespace kivhost {

// What is the matter, alone: "locked by someone else".
std::string WhatText(const kivstore::SFailure& failure);
// ".../index.lok is locked by someone else; try again", the path as the host writes it.
std::string ReasonText(const kivstore::SFailure& failure);
ExitCode ExitCodeOf(const kivstore::SFailure& failure);

// "unable to `what`: the reason", to be thrown.
HostError Unable(const std::string& what, const kivstore::SFailure& failure);

}  // namespace kivhost
