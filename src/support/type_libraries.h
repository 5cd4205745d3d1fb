#pragma once

namespace beacon {

/// Numbers of the type libraries among the binary's resources.
inline constexpr int kAdapterLibrary = 1;
inline constexpr int kEngineLibrary = 2;
inline constexpr int kDesignerLibrary = 3;

}  // namespace beacon
