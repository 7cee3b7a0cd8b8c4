// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace IPTaxParametersOtherDlg {

// The third country's tax parameters of the current tax year. Returns when the dialog is closed.
void DoTaxParameters();

} // namespace IPTaxParametersOtherDlg
