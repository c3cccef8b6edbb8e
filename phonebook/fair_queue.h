/// @file
/// A queue in which clients take turns.
#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>

namespace phonebook {

/// Items of a client keep their order; of several clients each gets one item in turn, however many
/// another one has queued.
template <typename Item>
class FairQueue {
 public:
  std::size_t Size() const { return size; }

  void Push(const std::string& client, Item item) {
    const auto [place, isNew] = places.try_emplace(client);
    if (isNew) place->second = turns.insert(turns.end(), Waiting{client, {}});
    place->second->items.push_back(std::move(item));
    ++size;
  }

  /// Takes the first item of the client whose turn it is. The queue must not be empty.
  Item Pop() {
    const auto turn = turns.begin();
    Item item = std::move(turn->items.front());
    turn->items.pop_front();
    --size;
    turns.splice(turns.end(), turns, turn);
    RemoveIfDone(turn);
    return item;
  }

  /// Takes the last item of the client with the most, if `client` has fewer even with one more.
  /// @return whether there is such a client; `item` is then replaced.
  bool PopFromLargest(const std::string& client, Item& item) {
    const auto own = places.find(client);
    std::size_t most = own == places.end() ? 1 : own->second->items.size() + 1;
    auto largest = turns.end();
    for (auto turn = turns.begin(); turn != turns.end(); ++turn) {
      if (turn->items.size() > most) most = (largest = turn)->items.size();
    }
    if (largest == turns.end()) return false;
    item = std::move(largest->items.back());
    largest->items.pop_back();
    --size;
    RemoveIfDone(largest);
    return true;
  }

  /// Takes the leading items of each client that fulfill `condition`.
  template <typename Condition, typename Take>
  void TakeLeading(Condition condition, Take take) {
    for (auto turn = turns.begin(); turn != turns.end();) {
      const auto current = turn++;
      while (!current->items.empty() && condition(current->items.front())) {
        take(std::move(current->items.front()));
        current->items.pop_front();
        --size;
      }
      RemoveIfDone(current);
    }
  }

 private:
  struct Waiting {
    std::string client;
    std::list<Item> items;  // a deque would allocate half a kilobyte for one item
  };
  using Turn = typename std::list<Waiting>::iterator;

  void RemoveIfDone(Turn turn) {
    if (!turn->items.empty()) return;
    places.erase(turn->client);
    turns.erase(turn);
  }

  std::list<Waiting> turns;
  std::unordered_map<std::string, Turn> places;
  std::size_t size = 0;
};

}  // namespace phonebook
