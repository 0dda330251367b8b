// SPDX-License-Identifier: GPL-3.0-or-later
// Has nothing of its own: CMake precompiles headers for a source only.
