// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>

#include "framework/Corvexpackageintf.h"

// What the package registers with its host.
struct TRegistration
{
    const char *ObjectName;
    const char *ClassName; // nullptr: no class
    const char *GroupKey;
    TObjectKinds ObjectKinds;
    const char *Caption;
    int DisplayValue;
};

// In the order in which they are registered.
std::span<const TRegistration> RegistrationTable();
