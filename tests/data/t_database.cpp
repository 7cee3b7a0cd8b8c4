// SPDX-License-Identifier: Apache-2.0
#include "tests/data/DatabaseConformance.h"

int main(int argc, char **argv)
{
    return RunOnEveryEngine<TDatabaseConformance>(argc, argv);
}
