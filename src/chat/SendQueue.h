#pragma once

// The outgoing brake: each slot's lines leave one per tick at most, each
// holding back the next for a wait that grows with its length and with the
// burst of lines sent since some queue was last seen empty.
namespace sendqueue {

// The burst count shared by all slots.
int& QueueBurst();

// The wait a line of `length` characters puts before the next one.
int WaitAfter(int length, int burst);

// One tick of the send step for one online slot.
void SendStep(int Index);

} // namespace sendqueue
