// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Told by a player, on the player's notification thread, which notification position the play
/// cursor has passed.
class IPlayerListener {
public:
    virtual ~IPlayerListener() = default;
    virtual void OnPositionReached(int index) = 0;
};
