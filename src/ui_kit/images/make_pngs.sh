#!/usr/bin/env bash
# Renders every SVG under svg/ to a PNG of the same relative path under png/, at the size the SVG
# declares. The PNGs are committed, so a build never needs the converter; run this after editing
# an SVG. Needs rsvg-convert (Debian: librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")"

if ! command -v rsvg-convert >/dev/null; then
  echo "make_pngs: rsvg-convert not found (apt-get install librsvg2-bin)" >&2
  exit 1
fi

count=0
while IFS= read -r -d '' svg; do
  rel="${svg#svg/}"
  png="png/${rel%.svg}.png"
  mkdir -p "$(dirname "$png")"
  rsvg-convert --format=png --output="$png" "$svg"
  count=$((count + 1))
done < <(find svg -name '*.svg' -print0 | sort -z)
echo "make_pngs: rendered $count images"
