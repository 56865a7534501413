#include "host/core/ChainNegotiation.h"

#include "host/core/CkChainMessages.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkImageSource.h"

#include <algorithm>

namespace {

bool sourceFormat(const CkImageSource& source, SkFormat& format) {
    format = SkFormat();
    format.known = guardedCall(false, [&] { return source.sourceImageInfo(format.info, &format.metadata); });
    return format.known;
}

/// The output that a block announces for the negotiated output of its first predecessor.
SkFormat announcedFormat(SkChainNode& node) {
    SkFormat announced;
    if (node.source != nullptr) {
        sourceFormat(*node.source, announced);
        return announced;
    }
    // A block explains a refusal in its message; an old explanation must not outlive a new answer.
    node.block->setErrorMessage(QString());
    if (node.provider != nullptr && !node.predecessors.empty() && node.predecessors.front()->output.known) {
        ChainNegotiation::queryOutput(*node.provider, node.predecessors.front()->output, announced);
    }
    return announced;
}

} // namespace

bool ChainNegotiation::queryOutput(CkImageProvider& provider, const SkFormat& input, SkFormat& output) {
    output = SkFormat();
    output.known = guardedCall(false, [&] {
        return provider.queryOutputImageInfo(input.info, output.info, &input.metadata, &output.metadata);
    });
    return output.known;
}

bool ChainNegotiation::currentOutput(const SkChainNode& node, SkFormat& format) {
    std::vector<CkImageProvider*> path; // from the block up to its source
    const SkChainNode* current = &node;
    while (current->source == nullptr) {
        if (current->provider == nullptr || current->predecessors.empty()) {
            format = SkFormat();
            return false;
        }
        path.push_back(current->provider);
        current = current->predecessors.front();
    }
    if (!sourceFormat(*current->source, format)) {
        return false;
    }
    return std::all_of(path.rbegin(), path.rend(), [&format](CkImageProvider* provider) {
        const SkFormat input = format;
        return queryOutput(*provider, input, format);
    });
}

EkFormatChange ChainNegotiation::negotiate(CkChainGraph& graph, const CkChainGraph::Nodes& order,
                                           const SkChainNode* pCurrent) {
    EkFormatChange largest = EkFormatChange::None;
    for (SkChainNode* node : order) {
        CkChainMessages::showSetUpError(*node, QString());
        const SkFormat announced = announcedFormat(*node);
        const bool changed = formatChange(announced, node->announced) != EkFormatChange::None;
        if (changed && node != pCurrent) {
            node->lastFrame = SkFormat(); // it only overrode the previous announcement
            node->refitFrame = node->source != nullptr ? node->refitFrame : 0;
        }
        const bool observed = node->lastFrame.known;
        node->announced = announced;
        node->negotiated = announced.known || (node->source != nullptr && observed);
        const SkFormat& output = observed ? node->lastFrame : announced;
        largest = std::max(largest, formatChange(output, node->output));
        const auto lock = graph.lock(); // other threads read the output through the chain
        node->output = output;
    }
    return largest;
}
