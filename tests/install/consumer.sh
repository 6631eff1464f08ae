#!/usr/bin/env bash
# consumer.sh PREFIX WORK QT HOW PROGRAM [ARGS]: see consume.sh; HOW is with_cmake or with_pkgconfig.
set -euo pipefail
prefix=$1 work=$2 qt=$3
shift 3
source "$(dirname "${BASH_SOURCE[0]}")/consume.sh"
"$@"
