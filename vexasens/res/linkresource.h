// SPDX-License-Identifier: Apache-2.0
#pragma once
// Resource identifiers of the module's texts about an instrument that dropped off the network.
#define IDS_LINK_LOST_WAITING 10440
#define IDS_INSTRUMENT_AWAY 10441
