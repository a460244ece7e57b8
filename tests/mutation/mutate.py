#!/usr/bin/env python3
"""Changes the plug-in's code in small ways, one at a time, and looks whether the folder's own tests notice."""

import argparse
import concurrent.futures
import hashlib
import os
import random
import sys
import time

import accepted
import results
import trial
from mutants import mutants_of


def arguments():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__)
    parser.add_argument("paths", nargs="*", metavar="FOLDER",
                        help=f"one of {', '.join(trial.TESTS)}, or a file in one; all of them if none is given")
    parser.add_argument("--sample", type=int, metavar="COUNT",
                        help=f"only so many mutants, by chance; more than {results.SAMPLE_ALLOWANCE} survivors that are "
                             "not listed fail the run")
    parser.add_argument("--seed", default="", metavar="TEXT", help="the sample that is drawn")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), metavar="COUNT", help="mutants at a time")
    parser.add_argument("--list", action="store_true", help="print the mutants, build and run nothing")
    return parser.parse_args()


def files_of(folder):
    return sorted(f"{folder}/{path.name}" for path in (trial.ROOT / folder).iterdir()
                  if path.suffix in (".cpp", ".h"))


def all_mutants():
    return {folder: [mutant for file in files_of(folder)
                     for mutant in mutants_of(file, (trial.ROOT / file).read_text(encoding="utf-8"))]
            for folder in trial.TESTS}


def chosen(mutants, paths):
    """By folder, those of the folders and files named, and whether each folder is there as a whole."""
    if not paths:
        return mutants, True
    paths = [os.path.normpath(path) for path in paths]
    for path in paths:
        if path not in mutants and results.folder_of(path) not in mutants:
            sys.exit(f"{path}: no folder of the plug-in, nor a file in one")
    kept = {folder: [mutant for mutant in found if folder in paths or mutant.file in paths]
            for folder, found in mutants.items()}
    return {folder: found for folder, found in kept.items() if found}, all(path in mutants for path in paths)


class Run:
    """Tries mutants, several at a time; builds and measures a folder's test before its first one."""

    def __init__(self, jobs, entries):
        self.jobs, self.entries, self.programs = jobs, entries, {}

    def prepare(self, folders):
        missing = [folder for folder in trial.TESTS if folder in folders and folder not in self.programs]
        if not missing:
            return
        print(f"Building the tests of {', '.join(missing)} ...", file=sys.stderr)
        trial.build(missing)
        for folder in missing:
            self.programs[folder] = trial.Program(folder)
            seconds = self.programs[folder].measure()
            print(f"{trial.TESTS[folder]} passes, in {seconds:.1f} s", file=sys.stderr)

    def verdicts(self, pairs):
        """In the order of the pairs of folder and mutant."""
        self.prepare({folder for folder, _ in pairs})
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            futures = [pool.submit(trial.try_mutant, self.programs[folder], mutant) for folder, mutant in pairs]
            try:
                for (folder, mutant), future in zip(pairs, futures):
                    outcome, seconds = future.result()
                    verdict = results.Verdict(folder, mutant, outcome, seconds, self.entries.get(mutant.key))
                    report(verdict)
                    yield verdict
            except BaseException:
                pool.shutdown(cancel_futures=True)
                raise


def report(verdict):
    mutant = verdict.mutant
    if verdict.outcome == trial.SURVIVED and not verdict.accepted:
        print(f"Survived: {mutant.file}:{mutant.line}: {mutant.change}\n{accepted.entry_text(mutant)}", flush=True)
    elif verdict.outcome != trial.SURVIVED and verdict.accepted:
        print(f"Listed, but {verdict.outcome}: {mutant.file}:{mutant.line}: {mutant.change}", flush=True)


def run_folders(run, mutants, is_whole):
    folders = []
    for name, found in mutants.items():
        begin = time.monotonic()
        folders.append(results.Folder(name, list(run.verdicts([(name, mutant) for mutant in found]))))
        print(f"{name}: {len(found)} tried in {time.monotonic() - begin:.0f} s", file=sys.stderr)
        if is_whole:
            results.write_document(folders[-1:])
    results.print_summary(folders)
    below = [folder.name for folder in folders if folder.share < results.GOAL]
    if below:
        print(f"Less than {results.GOAL:.0%} killed in {', '.join(below)}", file=sys.stderr)
    return not below


def run_sample(run, mutants, count, seed):
    """Tries so many that compile to something else, in the order that the seed gives."""
    pairs = [(folder, mutant) for folder, found in mutants.items() for mutant in found
             if mutant.key not in run.entries]
    # By a hash of its own, so that it does not depend on Python's version.
    random.Random(int.from_bytes(hashlib.sha256(seed.encode()).digest(), "big")).shuffle(pairs)
    tried = []
    while count > 0 and pairs:
        drawn, pairs = pairs[:count], pairs[count:]
        for verdict in run.verdicts(drawn):
            tried.append(verdict)
            print(f"{verdict.outcome:16}{verdict.seconds:5.1f} s  {verdict.mutant.file}:{verdict.mutant.line}: "
                  f"{verdict.mutant.change}", flush=True)
            count -= verdict.outcome in (trial.KILLED, trial.SURVIVED)
    survivors = results.unlisted_survivors(tried)
    print(f"{len(survivors)} survived that are not listed; up to {results.SAMPLE_ALLOWANCE} may")
    for survivor in survivors:
        print(f"    {survivor.mutant.file}:{survivor.mutant.line}: {survivor.mutant.change}")
    return len(survivors) <= results.SAMPLE_ALLOWANCE


def main():
    options = arguments()
    mutants = all_mutants()
    try:
        entries = accepted.parse(accepted.FILE.read_text(encoding="utf-8"))
    except accepted.Malformed as fault:
        sys.exit(f"{accepted.FILE.name}: {fault}")
    stale = accepted.without_mutant(entries, (mutant for found in mutants.values() for mutant in found))
    for entry in stale:
        print(f"{accepted.FILE.name}: no such mutant any more: {entry.file}: {entry.text}: {entry.change}",
              file=sys.stderr)
    mutants, is_whole = chosen(mutants, options.paths)
    if options.list:
        for mutant in (mutant for found in mutants.values() for mutant in found):
            print(f"{mutant.file}:{mutant.line}: {mutant.text}: {mutant.change}")
    if stale or options.list:
        sys.exit(1 if stale else 0)
    run = Run(options.jobs, entries)
    try:
        good = run_sample(run, mutants, options.sample, options.seed) if options.sample else \
            run_folders(run, mutants, is_whole)
    except trial.BuildFailure as failure:
        sys.exit(f"No mutant tried: {failure}")
    sys.exit(0 if good else 1)


main()
