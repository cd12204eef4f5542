// Runs the page's program in node, with the folders of this machine in place of a server's, for tests:
//     node node_run.mjs PROGRAM_FOLDER FOLDER_AS_ROOT OPTION...
// Options name files of FOLDER_AS_ROOT by paths from it. What the game writes into /out is written into the working folder.
import { readFileSync, readdirSync, statSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';

const [programFolder, root, ...options] = process.argv.slice(2);
// Emscripten's own code expects node's older kind of modules.
globalThis.require = createRequire(import.meta.url);
globalThis.__dirname = resolve(programFolder);
const { default: createTarnwick } = await import(pathToFileURL(resolve(programFolder, 'tarnwick.mjs')));
const module = await createTarnwick({
    wasmBinary: readFileSync(join(programFolder, 'tarnwick.wasm')),
    print: (line) => console.log(line),
    printErr: (line) => console.error(line),
    quit: (status) => {
        for (const name of module.FS.readdir('/out').slice(2)) writeFileSync(name, module.FS.readFile(`/out/${name}`));
        process.exit(status);
    },
});
const copy = (from, to) => {
    for (const name of readdirSync(from)) {
        const [source, target] = [join(from, name), `${to}/${name}`];
        if (statSync(source).isDirectory()) {
            module.FS.mkdirTree(target);
            copy(source, target);
        } else {
            module.FS.writeFile(target, readFileSync(source));
        }
    }
};
module.FS.mkdir('/out');
copy(root, '');
module.callMain(options);
