#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Checks that a compiler does not make: formatting, the one door to the user, and which way the folders may include each other.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

failed=0
fail()
{
    echo "$1" >&2
    failed=1
}

# Without a repository (an unpacked archive) everything that is not built counts.
mapfile -t sources < <(git ls-files '*.cpp' '*.h' 2>/dev/null || find . \( -name '*.cpp' -o -name '*.h' \) -not -path './build/*' -printf '%P\n')
if [ ${#sources[@]} -eq 0 ]; then
    echo "No sources found." >&2
    exit 1
fi
if ! printf '%s\0' "${sources[@]}" | xargs -0 -n 20 -P "$(nproc)" clang-format --dry-run -Werror; then
    fail "Some sources are not formatted as .clang-format says."
fi

# Boxes and file choices come from one unit; its header may name the types.
door='new +Q(MessageBox|InputDialog|FileDialog)|Q(MessageBox|InputDialog|FileDialog) +[a-z_]+ *[;({]|Q(MessageBox|InputDialog|FileDialog)[({]|QMessageBox::(information|question|warning|critical|about)\(|Q(Input|File)Dialog::get'
if printf '%s\n' "${sources[@]}" | grep -Ev '^(tests/|framework/Kvutils\.cpp$)' | xargs grep -nE "$door"; then
    fail "Message boxes and file dialogs are made in framework/Kvutils.cpp only."
fi

# layer FOLDER ALLOWED: the own includes of a folder's files must begin with one of the allowed names.
layer()
{
    local files
    files=$(printf '%s\n' "${sources[@]}" | grep -E "^$1/") || return 0
    if grep -nE '^#include "' $files | grep -vE "#include \"($2)"; then
        fail "A file in $1/ includes what it must not know."
    fi
}
layer embedded 'embedded/|framework/Export\.h"'
layer framework/data 'framework/data/|framework/Export\.h"|embedded/Engine\.h"'
layer records 'records/|framework/'
layer framework 'framework/|records/|embedded/Engine\.h"'
layer host 'host/|framework/'

exit $failed
