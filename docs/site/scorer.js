// The weights of Sphinx' search, but parameters of functions come last.
var Scorer = {
  score: ([, , , description, score]) => (/parameter/.test(description) ? score - 100 : score),
  objNameMatch: 11,
  objPartialMatch: 6,
  objPrio: {0: 15, 1: 5, 2: -5},
  objPrioDefault: 0,
  title: 15,
  partialTitle: 7,
  term: 5,
  partialTerm: 2,
};
