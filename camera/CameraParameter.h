// SPDX-License-Identifier: MIT
#pragma once

/// A camera parameter that can be set: its range, the step that a slider position stands for, and
/// its value, all in the parameter's own unit.
template <typename T>
struct CameraParameter
{
    T min = 0;
    T max = 0;
    T increment = 1;
    T value = 0;
};
