// SPDX-License-Identifier: Apache-2.0
#pragma once

// Shows what a copy of one tax year's scales and parameters to another year would do, and does it. Returns when the
// window is closed.
void DoNewTaxYear();
