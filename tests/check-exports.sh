#!/bin/sh
# Checks that the shared library exports its public interface and nothing
# else: every exported symbol must belong to namespace tarn (functions, data,
# vtables, typeinfo), apart from the few the linker adds. A standard-library
# instantiation over a type of ours, or a helper that lost its hidden
# visibility, fails the check with the offending names.
set -eu
library="$1"
unexpected=$(nm -D --defined-only "$library" | awk '{ print $3 }' | c++filt | grep -v -E \
  -e '^(typeinfo for |typeinfo name for |vtable for |VTT for |guard variable for |(non-)?virtual thunk to )?tarn::' \
  -e '^(_init|_fini|_edata|_end|__bss_start)$' || true)
# Private helpers keep their own namespaces and must never be exported.
unexpected="$unexpected$(nm -D --defined-only "$library" | awk '{ print $3 }' | c++filt | \
  grep -E 'tarn::(internal::|\(anonymous namespace\))' || true)"
if [ -n "$unexpected" ]; then
  echo "symbols exported from $library that are not tarn's public interface:"
  echo "$unexpected" | sort | head -50
  echo "($(echo "$unexpected" | wc -l) in all)"
  exit 1
fi
count=$(nm -D --defined-only "$library" | wc -l)
echo "$library exports $count symbols, all of namespace tarn"
