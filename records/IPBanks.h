// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/CorvexADOQuery.h"

// A bank branch, identified by its BSB number.
class CORVEX_API TqryIPBanks final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPBanks(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblBanks", "idBank", Keys::Server, owner)
    {}

    int GetIdBank() const { return KeyValue(); }
    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(BankName, "cBankName", 50)
    TEXT_COLUMN(BranchName, "cBranchName", 50)
    TEXT_COLUMN(BSBNumber, "cBSBNumber", 20)
    INT_COLUMN(State, "iStateID")
};
