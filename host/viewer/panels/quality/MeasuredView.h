#pragma once

class CkImageView;
class CkMdiView;
class CkViewArea;

/// The picture view in which a view is measured: itself, the one that it follows, or one of the same chain,
/// preferably with a depth or a phase shift. Null when there is none, and for null. User-interface thread.
CkImageView* measuredViewFor(CkMdiView* view, const CkViewArea& area);
