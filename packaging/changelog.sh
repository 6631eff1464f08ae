#!/usr/bin/env bash
# changelog.sh CHANGELOG.md PACKAGE VERSION MAINTAINER: prints what CHANGELOG.md tells of a version, in the
# form in which Debian's tools read it.
set -euo pipefail
changes=$1 package=$2 version=$3 maintainer=$4

echo "$package ($version) unstable; urgency=medium"
echo
sed -n "/^## ${version//./\\.}\b/,/^## /p" "$changes" |
    sed -e '/^##/d' -e '/^$/d' -e 's/^  /    /' -e 's/^- /  * /'
echo
echo " -- $maintainer  $(LC_ALL=C date --utc --rfc-email --date "@${SOURCE_DATE_EPOCH:-$(date +%s)}")"
