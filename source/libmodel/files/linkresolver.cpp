#include "libmodel/files/linkresolver.h"

#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"

#include <vector>

namespace Model {

namespace {

/// An original or a distant clone. Holds have no part in links: files do not name them.
struct Node
{
    enum class State {
        Unresolved,
        OnTheWay, ///< among those whose origin is being looked for
        Resolved,
    };

    LayerItem *cell;
    CellRef ref;
    int layerType;
    State state = State::Unresolved;
    Node *original = nullptr; ///< of a distant clone that is resolved, unless its origin does not exist
    bool isListed = false;    ///< a distant clone that stands in its original's list
};

class Resolver
{
public:
    explicit Resolver(const Scene &scene);

    [[nodiscard]] LinkProblem resolve();

private:
    void addLayer(const VisualLayer &layer);
    [[nodiscard]] Node *find(const CellRef &ref);
    [[nodiscard]] LinkProblem findOriginal(Node &distantClone);
    void tidyList(Node &original);

    std::vector<Node> m_nodes;
    CellRefMap<size_t> m_indexes; ///< in m_nodes
};

Resolver::Resolver(const Scene &scene)
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (const VisualLayer *layer = scene.visualLayer(layerIdx))
            addLayer(*layer);
    }
}

void Resolver::addLayer(const VisualLayer &layer)
{
    for (const auto &cell : layer.frames()) {
        if (cell->isClone())
            continue;
        const CellRef ref{layer.identifier(), cell->identifier};
        if (m_indexes.emplace(ref, m_nodes.size()).second)
            m_nodes.push_back({cell.get(), ref, layer.layerType()});
    }
}

Node *Resolver::find(const CellRef &ref)
{
    const auto found = m_indexes.find(ref);
    return found == m_indexes.end() ? nullptr : &m_nodes[found->second];
}

LinkProblem Resolver::resolve()
{
    for (Node &node : m_nodes) {
        if (!node.cell->isDistantClone())
            continue;
        const LinkProblem problem = findOriginal(node);
        if (problem.kind != LinkProblem::Kind::None)
            return problem;
    }
    for (Node &node : m_nodes) {
        if (node.cell->isOriginal())
            tidyList(node);
    }
    for (Node &node : m_nodes) {
        if (!node.original)
            continue;
        node.cell->drawing = node.original->cell->drawing;
        if (!node.isListed)
            node.original->cell->clones.append(node.ref);
    }
    return {};
}

// Goes from clone to clone until the end is known, and tells it to all on the way: each is passed once.
LinkProblem Resolver::findOriginal(Node &distantClone)
{
    std::vector<Node *> way;
    Node *node = &distantClone;
    while (node && node->cell->isDistantClone() && node->state != Node::State::Resolved) {
        if (node->state == Node::State::OnTheWay)
            return {LinkProblem::Kind::Circle, node->cell};
        node->state = Node::State::OnTheWay;
        way.push_back(node);
        Node *next = find(node->cell->origin);
        if (next && next->layerType != node->layerType)
            return {LinkProblem::Kind::AnotherKind, node->cell};
        node = next;
    }
    Node *original = node && node->cell->isDistantClone() ? node->original : node;
    CellRef origin = way.empty() ? CellRef() : way.back()->cell->origin;
    if (original)
        origin = original->ref;
    else if (node)
        origin = node->cell->origin;
    for (Node *passed : way) {
        passed->state = Node::State::Resolved;
        passed->original = original;
        passed->cell->origin = origin;
    }
    return {};
}

void Resolver::tidyList(Node &original)
{
    CellRefSet nowhere; // what was listed and does not exist
    original.cell->clones.removeIf([this, &original, &nowhere](const CellRef &ref) {
        Node *listed = find(ref);
        if (!listed)
            return !nowhere.insert(ref).second;
        if (listed->original != &original || listed->isListed)
            return true;
        listed->isListed = true;
        return false;
    });
}

// A distant clone has its drawing by now.
void spreadDrawings(const VisualLayer &layer)
{
    std::shared_ptr<Drawing> previous;
    for (const auto &cell : layer.frames()) {
        if (cell->isClone() && previous)
            cell->drawing = previous;
        previous = cell->drawing;
    }
}

} // namespace

LinkProblem resolveLinks(Scene &scene)
{
    const LinkProblem problem = Resolver(scene).resolve();
    if (problem.kind != LinkProblem::Kind::None)
        return problem;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (const VisualLayer *layer = scene.visualLayer(layerIdx))
            spreadDrawings(*layer);
    }
    return {};
}

} // namespace Model
