// What the implementations write: the same contents for all of them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct Person {
  std::string name;
  std::string telephone;
};

// `count` people in no order; always the same ones.
std::vector<Person> MakePeople(std::size_t count);

// A Cisco directory.
struct Directory {
  std::string title = "Colleagues";
  std::string previous = "http://phonebook.example/cisco/people?page=1";
  std::string next = "http://phonebook.example/cisco/people?page=3";
  std::vector<Person> people;
};

struct Key {
  int index;
  std::string label;
  std::string uri;
};

// An Aastra menu with both attribute flags.
struct Menu {
  std::string title = "Departments";
  std::vector<Person> items;  // prompts and URIs
  std::vector<Key> keys = {{1, "Select", "SoftKey:Select"},
                           {2, "Search", "http://phonebook.example/aastra/find"},
                           {6, "Exit", "SoftKey:Exit"}};
};
Menu MakeMenu(std::size_t items);

// An Aastra status with an alert.
struct Status {
  std::string session = "doorbell";
  std::string message = "Somebody is at the front door";
  int index = 1;
  int timeout = 30;
};

// A Snom text screen with one soft key.
struct Screen {
  std::string title = "Message of the day";
  std::string text = "The canteen is closed on Friday. Soup and bread are in the kitchen.";
  std::string key = "ENTER";
  std::string url = "http://phonebook.example/snom/home";
};
