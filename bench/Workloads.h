// The list of all workloads. Each runs in a process of its own (bench/Main.cpp) on one contender.
#pragma once

#include "bench/Contender.h"
#include "bench/Measure.h"

#include <span>
#include <vector>

namespace quill::bench {

// How big a workload is: Nodes is the size of the tree, Scale the part of the full counts for what is counted
// otherwise.
struct TSize {
    int Nodes = 1000000;
    double Scale = 1;
    int Scaled(int Count) const { return std::max(1, static_cast<int>(Count * Scale)); }
};

// What a user does once per key or click has to cost the same in every tree; Bulk work is about all nodes.
enum class TKind {
    Action, // measured in trees of several sizes
    Bulk,   // its time grows with the tree by nature, and so does its budget
    Fixed   // its budget does not depend on the size
};

struct TWorkload {
    const char* Name;
    const char* Title;
    const char* Unit;
    double Budget; // at full size, in Unit; 0 for none
    TKind Kind;
    TFigure (*Run)(TContender& Contender, const TSize& Size);
    bool NeedsLocale = false; // wants a real locale, which the caller's environment names
    bool OnlyOurs = false;    // about something that other trees do not have
};

std::span<const TWorkload> BulkWorkloads(); // memory, build, load, expand, select
std::span<const TWorkload> SortWorkloads();
std::span<const TWorkload> ChangeWorkloads(); // single nodes come and go
std::span<const TWorkload> PaintWorkloads();  // repaint, scroll
std::span<const TWorkload> InputWorkloads();  // keys, clicks, mouse, look-ups
// What only contenders of this program's toolkit know; defined once in each program.
std::span<const TWorkload> OwnWorkloads();

// A tree of that size, expanded, in the middle of its rows.
void OpenExpanded(TContender& Contender, const TSize& Size);
// Scrolls every few turns to another place of the upper half, so that paging does not come to the end of a small tree.
void ScrollAbout(TContender& Contender, const TSize& Size, int Turn);
// The visible node in the middle of the window.
TNode GetMiddleNode(TContender& Contender);

} // namespace quill::bench
