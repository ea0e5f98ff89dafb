#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Prints the folder that a Debian package's files lie in, as if that folder were "/". It is empty for
# a package that is installed. Any other package is downloaded and unpacked into build/packages
# without being installed; that is done only once.
#
#   scripts/unpack.sh PACKAGE
set -euo pipefail
(($# == 1)) || { echo "usage: ${0##*/} PACKAGE" >&2; exit 2; }
package=$1

state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
if [[ $state == installed ]]; then
  echo
  exit 0
fi

mkdir -p "$(dirname "${BASH_SOURCE[0]}")/../build/packages"
cd "$(dirname "${BASH_SOURCE[0]}")/../build/packages"
if [[ ! -d $package ]]; then
  compgen -G "${package}_*.deb" >/dev/null || apt-get -q download "$package" >&2
  # A run that is interrupted must not leave half a package under this name.
  rm -rf "$package.new"
  dpkg -x "${package}"_*.deb "$package.new"
  mv "$package.new" "$package"
fi
echo "$PWD/$package"
