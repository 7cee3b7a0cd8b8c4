// SPDX-License-Identifier: Apache-2.0
#pragma once

// Asks for a published BSB directory file, imports it with a progress window that can cancel, and shows what came of
// it.
void DoBSBImport();
