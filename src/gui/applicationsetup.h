#pragma once

/// Lets the windows follow the scale of the display: call before there is an application. A factor such as 1.25 is
/// taken as it is, since a rounded one would leave the windows small while their texts grow.
void followDisplayScale();
